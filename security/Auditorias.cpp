#include "Auditorias.h"
