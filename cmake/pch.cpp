// Holds the precompiled headers.
