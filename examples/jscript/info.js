// Shows format and tags of an audio file:  cscript //nologo info.js FILE
//
// On 64-bit Windows use the 32-bit script host, %SystemRoot%\SysWOW64\cscript.exe: Corvina is a
// 32-bit control.

function show(name, text) {
    if (text.length > 0)
        WScript.Echo(name + ": " + text);
}

function inform(file) {
    var player = new ActiveXObject("Corvina.cPlayer");
    player.Init();
    var result = player.OpenAudioFile(file);
    if (result === 0) {
        WScript.Echo(player.Info_Samplerate + " Hz, " + player.Info_BitsPerSample + " bit, " +
            player.Info_Channels + " channel(s), " + player.FormatName + ", " +
            player.GetSecondsAsTimeString(player.Info_Duration));
        player.GetID3Tags(file);
        show("Title", player.Tag_Title);
        show("Artist", player.Tag_Artist);
        show("Album", player.Tag_Album);
    } else {
        WScript.Echo("could not be opened, result " + result);
    }
    player.DeInit();
    return result;
}

if (WScript.Arguments.length === 0) {
    WScript.Echo("usage: cscript //nologo info.js FILE");
    WScript.Quit(2);
}
WScript.Quit(inform(WScript.Arguments(0)));
