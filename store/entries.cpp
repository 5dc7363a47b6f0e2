#include "store/entries.h"

CIDXNode::~CIDXNode() { delete info; }

CIDXCell::~CIDXCell() { delete info; }
