#include "Instalacion.h"
