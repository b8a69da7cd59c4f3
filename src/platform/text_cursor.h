// Where components look for the reader of saved settings.
#pragma once

#include "config/text_cursor.h"
