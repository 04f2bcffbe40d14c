' The command line: how a program reads the words that it was started with.
' Run it with:  zkthost run examples/command-line.bas --verbose --size=12 one two

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
Dim files() As String
Dim isVerbose As Boolean
Dim size As Integer = 1

' The program itself is the word at 0.
For i As Integer = 1 To info.argumentsCount - 1
    Dim word As String = info.argument(i)
    If word = "--verbose" Then
        isVerbose = True
    ElseIf Left(word, 7) = "--size=" Then
        size = Val(Mid(word, 8))
    Else
        files.Append word
    End If
Next

Print "verbose:", isVerbose
Print "size:", size
Print "files:", Join(files, ", ")
Print "all words:", Ubound(info.arguments) + 1
