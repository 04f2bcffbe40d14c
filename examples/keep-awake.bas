' Keeping the system awake while working: an activity tells it what must not interrupt.

Dim info As NSProcessInfoZKT = NSProcessInfoZKT.processInfo
Dim activity As NSProcessInfoActivityZKT
activity = info.beginActivity(NSProcessInfoZKT.NSActivityUserInitiated Or _
    NSProcessInfoZKT.NSActivityIdleDisplaySleepDisabled, "counting primes")

Try
    Print activity.Reason + ":", CountPrimes(1000)
Finally
    ' Also when the work fails.
    info.endActivity activity
End Try
Print "running:", activity.Handle <> 0

' One that is not ended so ends with its object: here with the Sub.
WorkQuietly

Sub WorkQuietly
    Dim quiet As NSProcessInfoActivityZKT
    quiet = NSProcessInfoZKT.processInfo.beginActivity(NSProcessInfoZKT.NSActivityBackground, "resting")
    Print quiet.Reason + ":", quiet.Options = NSProcessInfoZKT.NSActivityBackground
End Sub

Function CountPrimes(limit As Integer) As Integer
    Dim count As Integer
    For n As Integer = 2 To limit
        Dim isPrime As Boolean = True
        Dim divisor As Integer = 2
        While divisor * divisor <= n And isPrime
            isPrime = n Mod divisor <> 0
            divisor = divisor + 1
        Wend
        If isPrime Then count = count + 1
    Next
    Return count
End Function
