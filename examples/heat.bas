' Reacting to heat: the hotter the machine, the less is done at once.

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
Dim workers As Integer = WorkersAt(info.thermalState, info.activeProcessorCount)
Assert workers >= 1 And workers <= info.activeProcessorCount

' What that means for a machine with eight cores.
For Each state As Integer In Array(-1, 0, 1, 2, 3)
    Print StateName(state) + ":", WorkersAt(state, 8), "workers"
Next

' A program that asks for the notification learns of changes; before macOS 10.10.3 it has no name.
Dim name As String = NSProcessInfoZKT.NSProcessInfoThermalStateDidChangeNotification
Print name = "" Or name = "NSProcessInfoThermalStateDidChangeNotification"

Function WorkersAt(state As Integer, cores As Integer) As Integer
    If state >= NSProcessInfoZKT.NSProcessInfoThermalStateCritical Then Return 1
    If state = NSProcessInfoZKT.NSProcessInfoThermalStateSerious And cores > 1 Then Return cores \ 2
    Return cores
End Function

Function StateName(state As Integer) As String
    Dim names() As String = Array("nominal", "fair", "serious", "critical")
    If state < 0 Or state > Ubound(names) Then Return "unknown"
    Return names(state)
End Function
