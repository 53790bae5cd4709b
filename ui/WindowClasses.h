#pragma once
// Window class names and titles that other parts (and other processes of the
// program) look windows up by.
namespace mirodate {

constexpr const char* kMainWndClass = "MIRODATEMAINWND";
constexpr const char* kMainWndTitle = "Mirodate";
constexpr const char* kSplashScreenClass = "MIRODATE::SPLASHSCREEN";
constexpr const char* kSplashScreenTitle = "Mirodate";

} // namespace mirodate
