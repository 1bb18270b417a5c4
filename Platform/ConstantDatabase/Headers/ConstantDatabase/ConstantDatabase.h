// ConstantDatabase.h: immutable files of keys and values, made once as a whole and then only read.
//
// The format is D. J. Bernstein's "cdb": 256 hash tables behind the records, and a header of 2048
// bytes that says where they lie. A look-up costs a probe or two and no parsing; a file has up to
// 4 GiB. Keys may repeat, and the first record of a key is the one that is found.
#pragma once

#include <ConstantDatabase/Reader.h>
#include <ConstantDatabase/Writer.h>
