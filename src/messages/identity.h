#pragma once

// Who this program is, and the limit of bit numbers.

inline constexpr char SELF[] = "gatescope";
inline constexpr char VERSION[] = GATESCOPE_VERSION;
inline constexpr char BUILD[] = "20200630.09:37a";

/// The policy engine's product words; the first field of a gatebits file begins with one of them.
inline constexpr char GATEWARDEN_LIT[] = "gatewarden";
inline constexpr char GATEWARDEN_LITE_LIT[] = "gatewarden_lite";

inline constexpr int HIGHEST_BIT = 23;

inline constexpr char THIS_OS[] = "UNIX";
inline constexpr char OTHER_OS[] = "Windows";
inline constexpr char WINDOWS_OS[] = "Windows";
inline constexpr char UNIX_OS[] = "UNIX";
