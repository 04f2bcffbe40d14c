' Renaming the process, and taking its name back.

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
Dim before As String = info.processName

info.processName = "Importer"
Print info.processName

' All instances speak of the same process.
Dim other As New NSProcessInfoZKT
Print other.processName

other.processName = before
Print info.processName = before
