#include "Cross/engine/filesystem/ByteStreamConverter.h"

ByteStreamConverter::~ByteStreamConverter() = default;
