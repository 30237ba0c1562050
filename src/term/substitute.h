// All substitutions and fresh names, for callers that use several of them.
#pragma once

#include "term/substitute/beta.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/substitute/instantiate.h"
#include "term/substitute/plain.h"
#include "term/variables/free_names.h"
