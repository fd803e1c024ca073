#include "TerminosYCondiciones.h"
