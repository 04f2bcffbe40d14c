' Refusing to be terminated while saving. The calls nest: each "disable" needs its "enable".

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
info.automaticTerminationSupportEnabled = True

Save "letter.txt"
Try
    Save ""
Catch e As RuntimeException
    Print "not saved:", e.Message
End Try

Sub Save(name As String)
    info.disableSuddenTermination
    info.disableAutomaticTermination "saving " + name
    Try
        If name = "" Then Raise New RuntimeException("a file needs a name")
        Print "saving", name
        Print "saved"
    Finally
        info.enableAutomaticTermination "saving " + name
        info.enableSuddenTermination
        Print "may be terminated again"
    End Try
End Sub
