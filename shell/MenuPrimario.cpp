#include "MenuPrimario.h"
