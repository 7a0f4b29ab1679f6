#pragma once

namespace gatescope {

/// How the fast paths look at log bytes: by the wide vectors that newer processors have, by the
/// vectors of every one of this kind, or one after the other. The results are the same.
enum class Lanes { WIDE, VECTORS, BYTES };

/// The quickest ones that the processor has.
Lanes best_lanes();

}  // namespace gatescope
