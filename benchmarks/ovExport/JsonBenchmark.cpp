// Reading JSON into nodes beside RapidJSON's own document.
//
// Both sides read the same 20 MB array of material declarations from memory, visit every name and value of
// what they read, and free it. Each side's visit must find as many names, text bytes and numbers as were
// written. RapidJSON reads with its usual flags; it then neither validates UTF-8 nor rounds numbers exactly,
// and ours does both.
#include "support/Aims.h"
#include "support/Pairs.h"

#include <cmath>
#include <ovExport/JsonExporter.h>
#include <random>
#include <rapidjson/document.h>

namespace {

constexpr std::size_t TEXT_BYTES = 20'000'000;
constexpr int ROUNDS = 21;

/// What a visit of a document counts.
struct Sum {
    std::size_t names = 0;
    std::size_t textBytes = 0;
    double numbers = 0;
};

/// Writes an array of declarations as projects have them: strings, vectors as strings, factors, a few
/// textures.
class Declarations {
public:
    explicit Declarations(bool pretty) {
        ovExport::JsonExporter exporter;
        exporter.setPretty(pretty);
        _text = "[";
        for (unsigned int index = 0; _text.size() < TEXT_BYTES; ++index) {
            const auto root = ovExport::Node::create();
            _fill(*root, index);
            if (index > 0)
                _text += pretty ? ",\n" : ",";
            _text += exporter.exportTreeIntoString(root.get());
        }
        _text += "]";
    }

    const ovMemory::String& getText() const { return _text; }

private:
    void _fill(ovExport::Node& entry, unsigned int index) {
        entry.addMember("name")->setAsString("material/" + std::to_string(index));
        entry.addMember("type")->setAsString("PBS");
        for (const char* name : {"lightDirection", "lightColor", "specularColor", "emissiveColor"})
            entry.addMember(name)->setAsString(_makeVector());
        if (index % 4 == 0) {
            ovExport::Node* const texture = entry.addMember("albedoTexture");
            texture->addMember("name")->setAsString("textures/albedo" + std::to_string(index) + ".png");
            texture->addMember("packing")->setAsString("rgb");
        } else {
            entry.addMember("albedoColor")->setAsString(_makeVector());
        }
        for (const char* name : {"metalnessValue", "roughnessGlossinessValue", "alphaValue"})
            entry.addMember(name)->setAsFloat(_distribution(_random));
        entry.addMember("environmentTextureIsCubeByDefault")->setAsBool(false);
    }

    ovMemory::String _makeVector() {
        ovMemory::String text = "vector(";
        for (int i = 0; i < 3; ++i)
            text += std::to_string(_distribution(_random)) + ", ";
        return text + "1.000000)";
    }

    ovMemory::String _text;
    std::mt19937 _random{1};
    std::uniform_real_distribution<float> _distribution{0.0f, 1.0f};
};

void visit(const ovExport::Node& node, Sum& sum) {
    switch (node.getNodeNature()) {
    case ovExport::NODE_NATURE::OBJECT:
        for (unsigned int i = 0; i < node.getMemberCount(); ++i) {
            sum.names += node.getMemberKey(i).size();
            visit(*node.getMemberValueIndex(i), sum);
        }
        return;
    case ovExport::NODE_NATURE::ARRAY:
        for (unsigned int i = 0; i < node.getArraySize(); ++i)
            visit(*node.getArrayElement(i), sum);
        return;
    default:
        if (node.isString())
            sum.textBytes += node.getValueAsStringView().size();
        else
            sum.numbers += node.getValueAsDouble();
    }
}

void visit(const rapidjson::Value& value, Sum& sum) {
    if (value.IsObject()) {
        for (const auto& member : value.GetObject()) {
            sum.names += member.name.GetStringLength();
            visit(member.value, sum);
        }
    } else if (value.IsArray()) {
        for (const auto& element : value.GetArray())
            visit(element, sum);
    } else if (value.IsString()) {
        sum.textBytes += value.GetStringLength();
    } else if (value.IsNumber()) {
        sum.numbers += value.GetDouble();
    }
}

void readDeclarations(benchmark::State& state) {
    const Declarations declarations(state.range(0) != 0);
    const ovMemory::String& text = declarations.getText();
    Sum theirs;
    Sum ours;
    const ovBenchmarks::Side baseline{[&theirs] { theirs = {}; },
                                      [&theirs, &text] {
                                          rapidjson::Document document;
                                          document.Parse(text.data(), text.size());
                                          visit(document, theirs);
                                      }};
    const ovBenchmarks::Side library{[&ours] { ours = {}; },
                                     [&ours, &text] {
                                         const auto result = ovExport::JsonExporter().importIntoTree(text);
                                         visit(*result._tree, ours);
                                     }};
    ovBenchmarks::runPair(state, baseline, library, ROUNDS);
    ovBenchmarks::aimAtRatio(state, 1.5);
    constexpr double TO_MEGABYTES_A_SECOND = 1e-3;
    state.counters["ours_mb_s"] =
        static_cast<double>(text.size()) / state.counters["ours_ms"] * TO_MEGABYTES_A_SECOND;
    state.counters["difference"] = std::abs(ours.numbers - theirs.numbers);
    if (ours.names != theirs.names || ours.textBytes != theirs.textBytes)
        state.SkipWithError("the two sides read different documents");
}

BENCHMARK(readDeclarations)
    ->ArgName("pretty")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
