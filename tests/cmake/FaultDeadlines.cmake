# Deadlines of their own for the fault cases whose calculation would run for hours or days
# without its bound (included by ctest after the discovered tests; names that are not there,
# as in the one-test-per-program Windows runs, are ignored).
set_tests_properties(NumericFault.MissileEndsSoonAtAnyFrameRate
                     NumericFault.InterpolationStopsAtItsSampleCeiling
                     NumericFault.InterpolationKeepsWhatItMadeWhenMemoryRunsOut
                     PROPERTIES TIMEOUT 120)
# A destructor that waited for a player thread that never started would wait for ever.
set_tests_properties(SimulationFault.ClockWithoutItsPlayerIsAPlainClock PROPERTIES TIMEOUT 30)
