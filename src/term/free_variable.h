#pragma once
#include "term/variables/free_variable.h"
