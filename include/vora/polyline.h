// Bulges, arcs and polylines: conversion, measures, tessellation, point insertion.
#ifndef VORA_POLYLINE_H
#define VORA_POLYLINE_H

#include "vora/arx.h"

#endif
