' What goes wrong, and how to catch it.

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo

' A Cocoa exception becomes an NSExceptionZKT, which is a RuntimeException.
Try
    Print info.argument(99)
Catch e As NSExceptionZKT
    Print "no such argument:", InStr(e.Message, "99") > 0, e IsA RuntimeException
End Try

' An activity that is not there.
Try
    info.endActivity Nil
Catch e As NilObjectException
    Print "no activity:", e.Message
End Try

' What a Dictionary does not have.
Try
    Print info.environment.Value("NO_SUCH_VARIABLE")
Catch e As KeyNotFoundException
    Print "no variable:", e.Message
End Try

' The clauses are tried in order; Finally runs in any case.
Try
    Dim parts() As String = Split("a,b", ",")
    Print parts(2)
Catch e As NilObjectException
    Print "not this one"
Catch e As OutOfBoundsException
    Print "no such part:", e.Message
Finally
    Print "done"
End Try
