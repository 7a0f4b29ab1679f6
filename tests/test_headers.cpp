// The target of the precompiled headers that all tests share.
