#include "XDataFetcher.h"

XDataFetcher::XDataFetcher() = default;

XDataFetcher::~XDataFetcher() = default;
