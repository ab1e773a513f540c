#pragma once

class Korvantine;

// Puts the instruments panel into the main frame's page registry.
void RegistraStrumenti(Korvantine &frame);
