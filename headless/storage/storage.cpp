#include "host/storage.h"

ISave::~ISave() = default;
ILoad::~ILoad() = default;
