#include "FrameLogeo.h"
