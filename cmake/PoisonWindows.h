// Forced into every file of the portable core when it is compiled for Windows: a Windows name there is an error.
#pragma GCC poison HWND HDC HINSTANCE HBITMAP HPEN HBRUSH HFONT HKEY WPARAM LPARAM LRESULT COLORREF DWORD LPCWSTR
