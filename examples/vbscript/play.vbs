' Plays an audio file and waits for its end:  cscript //nologo play.vbs FILE
'
' The control lives by the messages of its thread, and a script handles them only while it waits:
' WScript.Sleep does that on Windows. (Wine's script host has no WScript.Sleep.)
'
' On 64-bit Windows use the 32-bit script host, %SystemRoot%\SysWOW64\cscript.exe.

Option Explicit

If WScript.Arguments.Count = 0 Then
    WScript.Echo "usage: cscript //nologo play.vbs FILE"
    WScript.Quit 2
End If

Const WaveMapper = -1

Dim player, result
Set player = WScript.CreateObject("Corvina.cPlayer", "player_")
player.Init

result = player.PlayStart(WScript.Arguments(0), WaveMapper, 0)
If result <> 0 Then
    WScript.Echo "could not be played, result " & result
Else
    Do While player.IsPlaying
        WScript.Sleep 50
    Loop
End If

player.DeInit
WScript.Quit result

' The events, by the prefix that CreateObject was given.

Sub player_DonePlay()
    WScript.Echo "done"
End Sub

Sub player_Err(functionName, errorNumber, errorDecription)
    ' The reset of the closed device, number 5, comes at the end of every playback.
    If functionName = "StopPlayAudio:waveOutReset" And errorNumber = 5 Then Exit Sub
    WScript.Echo functionName & " " & errorNumber & " " & errorDecription
End Sub
