#include "Auditoria.h"
