# (vacío)
