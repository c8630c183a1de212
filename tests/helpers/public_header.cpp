// Compiled once for each public header: it needs no other one before it, and may be included twice.
#include HEADER
#include HEADER

static_assert(__cplusplus == 201703L, "the oldest language that the headers promise");
