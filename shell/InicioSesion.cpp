#include "InicioSesion.h"
