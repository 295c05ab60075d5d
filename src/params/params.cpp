#include "params/default_image.h"
#include "params/value_tables.h"
