// The umbrella header alone must compile and bring in the whole interface.
#include "tarsel.h"

#include <gtest/gtest.h>

TEST(UmbrellaHeader, DeclaresEverySubsystem) {
    CFPSLMeasureUnit measure;
    float inches = 0.0f;
    EXPECT_EQ(measure.Evaluate(std::string("1'6 1/2"), inches), 1);
    EXPECT_FLOAT_EQ(inches, 18.5f);
    REJobFile jobs;
    EXPECT_EQ(jobs.IsOpen(), 0);
}

// Two classes of each subsystem added since, named through the umbrella header alone.
TEST(UmbrellaHeader, DeclaresTheCatalogueLaborAndProductionFiles) {
    REShapeFile shapes;
    REGradeFile grades;
    RELaborCodeFile laborCodes;
    RETaxFile taxes;
    REPdcDataFile pieces;
    REPdcTrackingDataFile tracking;
    EXPECT_EQ(0, shapes.IsOpen() + grades.IsOpen() + laborCodes.IsOpen() + taxes.IsOpen() + pieces.IsOpen() +
                     tracking.IsOpen());
}
