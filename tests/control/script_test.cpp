// The player in the system's script engines.

#include "Support.h"

using namespace corvina::test;

namespace {

std::string runScript(const wchar_t* extension, const std::string& text) {
    wchar_t folder[MAX_PATH]{};
    ::GetTempPathW(MAX_PATH, folder);
    const std::wstring path =
        std::wstring(folder) + L"corvina" + std::to_wstring(::GetCurrentProcessId()) + extension;
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    ::CloseHandle(file);
    std::string output;
    EXPECT_EQ(0, run(L"cscript //nologo \"" + path + L"\"", &output));
    ::DeleteFileW(path.c_str());
    return output;
}

TEST(Script, vbscript_creates_and_uses_the_player) {
    const std::string output = runScript(L".vbs", "Set p = CreateObject(\"Corvina.cPlayer\")\r\n"
                                                  "p.Init\r\n"
                                                  "p.Tag_Artist = \"Somebody\"\r\n"
                                                  "WScript.Echo p.Tag_Artist\r\n"
                                                  "WScript.Echo p.GetSecondsAsTimeString(36000)\r\n"
                                                  "WScript.Echo \"playing \" & p.IsPlaying\r\n"
                                                  "p.DeInit\r\n");
    EXPECT_NE(std::string::npos, output.find("Somebody")) << output;
    EXPECT_NE(std::string::npos, output.find("10:00:00")) << output;
    EXPECT_NE(std::string::npos, output.find("playing False")) << output;
}

TEST(Script, vbscript_gets_the_number_and_text_of_an_error) {
    const std::string output =
        runScript(L".vbs", "Set p = CreateObject(\"Corvina.cPlayer\")\r\n"
                           "On Error Resume Next\r\n"
                           "x = p.Info_Channels\r\n"
                           "WScript.Echo \"number \" & (Err.Number And 255)\r\n"
                           "WScript.Echo Err.Description\r\n");
    EXPECT_NE(std::string::npos, output.find("number 91")) << output;
    EXPECT_NE(std::string::npos, output.find("not set")) << output;
}

TEST(Script, jscript_creates_and_uses_the_player) {
    const std::string output =
        runScript(L".js", "var p = new ActiveXObject(\"Corvina.cPlayer\");\r\n"
                          "p.Tag_Album = \"Some album\";\r\n"
                          "WScript.Echo(p.Tag_Album);\r\n"
                          "WScript.Echo(\"open \" + p.OpenAudioFile(\"none.wav\"));\r\n");
    EXPECT_NE(std::string::npos, output.find("Some album")) << output;
    EXPECT_NE(std::string::npos, output.find("open 1")) << output;
}

} // namespace
