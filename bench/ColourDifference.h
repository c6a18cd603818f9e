// How different two colours look.
#pragma once

struct LabColour
{
    double L;
    double a;
    double b;
};

// CIEDE2000 (ISO/CIE 11664-6) with all weights 1. Below 1 nobody sees a difference.
double DeltaE2000(const LabColour &one, const LabColour &other);
