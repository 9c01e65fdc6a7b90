#include "simulator/DeviceText.h"

#include <gtest/gtest.h>

namespace simulator
{

namespace
{

TEST(DeviceTextTest, WhatIsUnknownIsRefused)
{
    for (const char* text : {"", "com1", "com1,reader=", "com1,readers=", "com1,fault=write vblock/12/?"}) {
        EXPECT_TRUE(ParseDeviceText(text)) << text;
    }
    for (const std::string option : {"card=2k",          "card=",
                                     "CARD=1k",          "uid=A1B2C3",
                                     "uid=A1B2C3DG",     "image=",
                                     "reader",           "readers=4100",
                                     "remove=",          "remove=-1",
                                     "remove=1x",        "remove=4294967296",
                                     "colour=red",       "card=1k,,card=1k",
                                     "fault=login/1",    "fault=login/0/N",
                                     "fault=login/1/Z",  "fault=login/1/NX",
                                     "fault=login/1/N/", "fault=dance/1/N"}) {
        EXPECT_FALSE(ParseDeviceText("com1," + option)) << option;
    }
}

} // namespace
} // namespace simulator
