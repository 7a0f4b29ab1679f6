#pragma once

namespace gatescope {

// The program's name and version, and the names of the operating systems.

inline constexpr char SELF[] = "gatescope";
inline constexpr char VERSION[] = GATESCOPE_VERSION;
inline constexpr char BUILD[] = "20200630.09:37a";

/// Product names of the policy engine; the first field of a gatebits file begins with one of them.
inline constexpr char GATEWARDEN_LIT[] = "gatewarden";
inline constexpr char GATEWARDEN_LITE_LIT[] = "gatewarden_lite";

inline constexpr char WINDOWS_OS[] = "Windows";
inline constexpr char UNIX_OS[] = "UNIX";
/// The system that this program runs on, and the one whose files it cannot examine.
inline constexpr const auto& THIS_OS = UNIX_OS;
inline constexpr const auto& OTHER_OS = WINDOWS_OS;

}  // namespace gatescope
