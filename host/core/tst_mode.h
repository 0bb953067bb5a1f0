#ifndef TST_MODE_H
#define TST_MODE_H

/// Whether the host runs in its regression mode: tst_set_regtest_mode has said so, or, unless it has been
/// called, the environment variable IMAGEWRIGHT_REGTEST is set to a switch that is on.
bool tst_is_regtest_mode();
void tst_set_regtest_mode(bool on);

#endif
