#pragma once

/// How the fast paths look at log bytes: by the processor's vectors where it has them, or one
/// after the other. The results are the same.
enum class Lanes { VECTORS, BYTES };
