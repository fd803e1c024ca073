#include "Principal.h"
