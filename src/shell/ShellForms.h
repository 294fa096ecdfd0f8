#pragma once

struct Platform;

// Tells the platform's form registry how to make each form of the program.
void defineForms(Platform &platform);
