' What is this process, and on which machine does it run?

Const gibibyte = 2 ^ 30

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo

Print "Process", info.processName, "with the number", info.processIdentifier
Print "System ", SystemName(info.operatingSystem) + ",", info.operatingSystemVersionString
Print "Cores  ", info.activeProcessorCount, "of", info.processorCount
Print "Memory ", Tenths(info.physicalMemory / gibibyte), "GiB"
Print "Running", Duration(info.systemUptime)

' What is told twice is the same.
Assert info.activeProcessorCount <= info.processorCount
Assert info.globallyUniqueString <> info.globallyUniqueString, "each is new"
Assert (New NSProcessInfoZKT).processIdentifier = info.processIdentifier

Function SystemName(system As Integer) As String
    If system = NSProcessInfoZKT.NSMACHOperatingSystem Then Return "macOS"
    If system = NSProcessInfoZKT.NSSolarisOperatingSystem Then Return "Solaris"
    Return "system " + Str(system)
End Function

Function Duration(seconds As Double) As String
    Dim minutes As Integer = seconds \ 60
    Dim text As String = Str(minutes Mod 60) + " minutes"
    If minutes >= 60 Then text = Str(minutes \ 60) + " hours and " + text
    Return text
End Function

Function Tenths(number As Double) As Double
    Dim whole As Integer = number * 10
    Return whole / 10
End Function
