' The environment's variables, sorted by name.

Dim variables As Dictionary = NSProcessInfoZKT.processInfo.environment
Dim names() As String

For Each name As Variant In variables.Keys
    names.Append name
Next
names.Sort

For Each name As String In names
    Print name + "=" + variables.Value(name)
Next

Print variables.Count, "variables"
If variables.HasKey("HOME") Then Print "At home in", variables.Value("HOME")
Print "Editor:", variables.Lookup("NO_SUCH_EDITOR", "none")
