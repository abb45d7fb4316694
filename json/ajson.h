// The reflective JSON layer: AJSON records, the reader, the writer.
#pragma once

#include "json/recordreader.h"
#include "json/reflection.h"
#include "json/writer.h"
