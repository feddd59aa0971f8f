#pragma once

#include <string>

/// The estimated flash time in words, rounded to the nearest hour or minute, an exact half downwards.
std::string getFlashTime();
