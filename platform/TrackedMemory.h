// The phone's tracking allocation: memory whose every block is known by the source file and line that asked for it.
//
// A block from this operator new is given back with the operator delete of the same form, after the object in it has
// been destroyed; a plain delete of it is an error. pszFile must stay valid for the life of the process (a literal).
#pragma once

#include <cstddef>

// Null when there is no memory. Any thread.
void* operator new(std::size_t uSize, const char* pszFile, int iLine) noexcept;

// Does nothing for null. The file and line are those of the release; they need not be those of the allocation. Any
// thread.
void operator delete(void* pBlock, const char* pszFile, int iLine) noexcept;
