Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
Print info.processName + " runs on " + info.hostName
If info.thermalState >= NSProcessInfoZKT.NSProcessInfoThermalStateSerious Then Print "Work less"
