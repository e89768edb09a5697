#include "XResampleFilter.h"

XResampleFilter::~XResampleFilter() = default;
