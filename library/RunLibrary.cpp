#include "library/RunLibrary.h"
