#include "store/entries.h"

CIDXCell::~CIDXCell() { delete info; }
