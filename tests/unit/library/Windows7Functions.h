#pragma once

// The functions of Windows 7 that the delivered files import, by library. Before a name is added,
// look up since which Windows it exists: one that Windows 7 lacks must be looked up at run time
// instead.

namespace corvina::test {

inline constexpr char functionsOfWindows7[] = R"(
advapi32.dll:
    CryptAcquireContextA CryptGenRandom CryptReleaseContext RegCloseKey RegCreateKeyExW
    RegDeleteKeyValueW RegDeleteTreeW RegGetValueW RegOpenKeyExW RegSetValueExW
bcrypt.dll:
    BCryptCloseAlgorithmProvider BCryptGenRandom BCryptOpenAlgorithmProvider
comctl32.dll:
    DefSubclassProc DrawInsert InitCommonControlsEx LBItemFromPt MakeDragList SetWindowSubclass
comdlg32.dll:
    ChooseColorW GetOpenFileNameW
gdi32.dll:
    BitBlt CloseEnhMetaFile CloseMetaFile CreateCompatibleBitmap CreateCompatibleDC CreateDIBSection
    CreateEnhMetaFileW CreateFontIndirectW CreateMetaFileW CreatePen CreateRectRgnIndirect
    CreateSolidBrush DeleteDC DeleteEnhMetaFile DeleteMetaFile DeleteObject GetDeviceCaps
    GetGraphicsMode GetLayout GetObjectType GetStockObject GetWorldTransform IntersectClipRect
    LPtoDP ModifyWorldTransform Polygon Polyline RectVisible Rectangle RestoreDC SaveDC SelectObject
    SetBrushOrgEx SetDCBrushColor SetMapMode SetStretchBltMode SetViewportOrgEx SetWindowExtEx
    SetWindowOrgEx StretchBlt
gdiplus.dll:
    GdipAlloc GdipCloneImage GdipCreateBitmapFromHBITMAP GdipDisposeImage GdipFree
    GdipSaveImageToFile GdiplusShutdown GdiplusStartup
kernel32.dll:
    AcquireSRWLockExclusive AddVectoredExceptionHandler AreFileApisANSI CloseHandle
    CompareStringOrdinal
    CreateEventA CreateEventW CreateFileA CreateFileMappingW CreateFileW CreateHardLinkW
    CreateSemaphoreA CreateThread DeleteCriticalSection DeleteFileW DeviceIoControl DuplicateHandle
    EnterCriticalSection FileTimeToSystemTime FindClose FindFirstFileA FindFirstFileW
    FindFirstVolumeW FindNextFileA FindNextFileW FindNextVolumeW FindVolumeClose FlushFileBuffers
    FlushInstructionCache FormatMessageA FreeConsole FreeLibrary FreeLibraryAndExitThread GetACP
    GetCommandLineW GetConsoleMode GetConsoleProcessList GetConsoleScreenBufferInfo GetConsoleWindow
    GetCurrentDirectoryW GetCurrentProcess GetCurrentProcessId GetCurrentThread GetCurrentThreadId
    GetDiskFreeSpaceExW GetDriveTypeA GetDriveTypeW GetFileAttributesExW GetFileAttributesW
    GetFileInformationByHandle GetFileSize GetFileSizeEx GetFileType GetFullPathNameA
    GetFullPathNameW GetHandleInformation GetLastError GetLogicalDrives GetModuleFileNameW
    GetModuleHandleA GetModuleHandleExW GetModuleHandleW GetNumberOfConsoleInputEvents
    GetProcAddress GetProcessAffinityMask GetProcessTimes GetStartupInfoA GetStdHandle
    GetSystemTimeAdjustment GetSystemTimeAsFileTime GetTempPathW GetThreadContext GetThreadErrorMode
    GetThreadPriority GetThreadTimes GetTickCount GetTickCount64 GetTimeZoneInformation
    GetVersionExA GetVolumeInformationW GlobalAlloc GlobalFree GlobalLock GlobalUnlock
    InitializeCriticalSection IsBadWritePtr IsDBCSLeadByteEx IsDebuggerPresent
    IsProcessorFeaturePresent LeaveCriticalSection LoadLibraryA
    LoadLibraryExW LoadLibraryW LocalAlloc LocalFree MapViewOfFile MoveFileExA MoveFileExW MulDiv
    MultiByteToWideChar OpenProcess OutputDebugStringA QueryPerformanceCounter
    QueryPerformanceFrequency RaiseException ReadConsoleInputW ReadFile ReleaseSRWLockExclusive
    ReleaseSemaphore RemoveDirectoryW RemoveVectoredExceptionHandler ResetEvent ResumeThread
    RtlUnwind SetConsoleCtrlHandler SetConsoleMode SetConsoleTextAttribute SetDllDirectoryW
    SetEndOfFile SetErrorMode SetEvent SetFilePointer SetFilePointerEx SetLastError
    SetProcessAffinityMask SetSystemTime SetThreadContext SetThreadErrorMode SetThreadPriority
    SetUnhandledExceptionFilter Sleep SuspendThread TlsAlloc TlsFree TlsGetValue TlsSetValue
    TryEnterCriticalSection UnmapViewOfFile VirtualProtect VirtualQuery WaitForMultipleObjects
    WaitForSingleObject WideCharToMultiByte WriteConsoleW WriteFile
msacm32.dll:
    acmDriverClose acmDriverEnum acmDriverOpen acmStreamClose acmStreamConvert acmStreamOpen
    acmStreamPrepareHeader acmStreamSize acmStreamUnprepareHeader
ole32.dll:
    CoCreateInstance CoInitialize CoInitializeEx CoTaskMemAlloc CoTaskMemFree CoUninitialize
    CreateDataAdviseHolder CreateErrorInfo CreateOleAdviseHolder GetErrorInfo PropVariantClear
    SetErrorInfo StringFromGUID2
oleaut32.dll:
    DispCallFunc LoadTypeLibEx OleCreatePictureIndirect OleTranslateColor RegisterTypeLib
    RegisterTypeLibForUser SafeArrayDestroy SysAllocStringLen SysFreeString SysStringLen
    UnRegisterTypeLib UnRegisterTypeLibForUser VariantChangeType VariantClear VariantCopy
    VariantInit
shell32.dll:
    CommandLineToArgvW DragFinish DragQueryFileW SHBrowseForFolderW SHGetPathFromIDListW
shlwapi.dll:
    PathCombineW PathIsRelativeW PathIsUNCW
user32.dll:
    AdjustWindowRect AppendMenuW BeginPaint CallWindowProcA CheckMenuItem CheckMenuRadioItem
    ChildWindowFromPoint CreatePopupMenu CreateWindowExW DefWindowProcW DeleteMenu DestroyWindow
    DispatchMessageW EnableWindow EndPaint EqualRect FillRect GetActiveWindow GetCapture
    GetClassNameW GetClientRect GetDC GetFocus GetKeyState GetMenu GetPropA GetSubMenu GetSysColor GetSystemMetrics
    GetSysColorBrush GetWindowLongA GetWindowLongW GetWindowRect GetWindowTextLengthW GetWindowTextW
    GetWindowThreadProcessId IntersectRect InvalidateRect IsChild IsDialogMessageW IsIconic
    IsRectEmpty IsWindow IsWindowEnabled IsWindowVisible KillTimer LoadAcceleratorsW LoadCursorW
    LoadIconW MessageBoxW MonitorFromRect MoveWindow MsgWaitForMultipleObjectsEx OffsetRect
    PeekMessageA PeekMessageW PostMessageA PostQuitMessage PtInRect RedrawWindow RegisterClassExW
    RegisterClassW RegisterWindowMessageA ReleaseDC RemovePropA SendMessageW SetFocus SetParent
    SetPropA SetTimer SetWindowLongA SetWindowLongW SetWindowPos SetWindowRgn SetWindowTextW
    ShowWindow SystemParametersInfoW TranslateAcceleratorW TranslateMessage UnregisterClassW
    UpdateWindow
winmm.dll:
    mmioClose mmioDescend mmioOpenA mmioRead mmioSeek mmioStringToFOURCCA waveInGetDevCapsA
    waveInGetNumDevs waveOutClose waveOutGetDevCapsA waveOutGetErrorTextW waveOutGetNumDevs
    waveOutGetPosition waveOutOpen waveOutPause waveOutPrepareHeader waveOutReset waveOutRestart
    waveOutUnprepareHeader waveOutWrite
)";

} // namespace corvina::test
