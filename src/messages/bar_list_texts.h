#pragma once

namespace gatescope {

// Names and titles of the rows of the bar lists.

inline constexpr char KEY_NOUN[] = "Key";
/// The lite edition's word for a key.
inline constexpr char CPD_NOUN[] = "CPD";
inline constexpr char BIT_NOUN[] = "Bit";

inline constexpr char KEY_NOT_AVAILABLE[] =
    "----Key Not available (or commented out) at graph time----";

/// Bit's name (and count).
inline constexpr char BIT_NOT_INVOKED[] = "The %s bit was not invoked during this period";
inline constexpr char BIT_INVOKED_ONCE[] = "The %s bit was invoked once during this period";
inline constexpr char BIT_INVOKED[] = "The %s bit was invoked %u times during this period";
/// Noun, key (and count).
inline constexpr char KEY_NOT_INVOKED[] = "%s #%d was not invoked during this period";
inline constexpr char KEY_INVOKED_ONCE[] = "%s #%d was invoked once during this period";
inline constexpr char KEY_INVOKED[] = "%s #%d was invoked %u times during this period";

}  // namespace gatescope
