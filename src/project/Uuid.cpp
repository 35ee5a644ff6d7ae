#include "project/Uuid.h"
