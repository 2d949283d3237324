// Runs the program inside a test.
#pragma once

#include <gtest/gtest.h>
#include <ovMemory/Memory.h>
#include <rapidjson/document.h>
#include <veldris/commands/Commands.h>

/// What a run of the program left.
struct Outcome {
    int status = -1;
    ovMemory::String output;
    ovMemory::String error;
};

inline Outcome runVeldris(const ovMemory::Buffer<ovMemory::String>& arguments) {
    ovMemory::Buffer<const char*> pointers = {"veldris"};
    for (const ovMemory::String& argument : arguments)
        pointers.push_back(argument.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Outcome outcome;
    outcome.status = veldris::runProgram(static_cast<int>(pointers.size()), pointers.data());
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.error = testing::internal::GetCapturedStderr();
    return outcome;
}

/// The JSON object that a run printed with --json.
inline rapidjson::Document parseJson(const Outcome& outcome) {
    rapidjson::Document document;
    document.Parse(outcome.output.c_str());
    EXPECT_FALSE(document.HasParseError()) << outcome.output;
    return document;
}
