' Shows format and tags of an audio file:  cscript //nologo info.vbs FILE
'
' On 64-bit Windows use the 32-bit script host, %SystemRoot%\SysWOW64\cscript.exe: Corvina is a
' 32-bit control.

Option Explicit

If WScript.Arguments.Count = 0 Then
    WScript.Echo "usage: cscript //nologo info.vbs FILE"
    WScript.Quit 2
End If

Dim player, file, result
file = WScript.Arguments(0)

Set player = CreateObject("Corvina.cPlayer")
player.Init

result = player.OpenAudioFile(file)
If result <> 0 Then
    WScript.Echo "could not be opened, result " & result
    player.DeInit
    WScript.Quit result
End If

WScript.Echo player.Info_Samplerate & " Hz, " & player.Info_BitsPerSample & " bit, " & _
    player.Info_Channels & " channel(s), " & player.Info_Bitrate \ 1000 & " kbit/s, " & _
    player.GetSecondsAsTimeString(player.Info_Duration)

player.GetID3Tags file
ShowTag "Title", player.Tag_Title
ShowTag "Artist", player.Tag_Artist
ShowTag "Album", player.Tag_Album

player.DeInit

Sub ShowTag(name, text)
    If Len(text) > 0 Then WScript.Echo name & ": " & text
End Sub
