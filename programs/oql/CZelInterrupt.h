// Ctrl-C. A statement under way always ends; what follows asks here whether it still should begin.
#pragma once

class CZelInterrupt {
public:
    static void Install();  // from now on the signal only raises the flag, and ends a wait for input
    static bool Raised();
    static void Clear();
};
