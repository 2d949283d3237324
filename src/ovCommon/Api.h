// The one visibility macro of the family: everything that a library offers to others carries it.
#pragma once

/// Symbols are hidden by default; a class or function that another library may use is marked OV_API.
#define OV_API __attribute__((visibility("default")))
