#include "render/PersonNetwork.h"

#include "base/AppError.h"
#include "render/PersonNetwork_generated.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>
#include <xnnpack.h>

namespace vantry {

namespace {

/// The operators of such a network, by the numbers of the file format.
enum class Operation {
    Add = 0,
    AveragePool = 1,
    Convolution = 3,
    DepthwiseConvolution = 4,
    Dequantize = 6,
    Sigmoid = 14,
    Multiply = 18,
    Rectify = 19,
    Resize = 23,
    Custom = 32,
    Mean = 40,
    HardSwish = 117,
};

constexpr int halfFloats = 1; ///< A tensor's type in the file.
constexpr int samePadding = 0; ///< A convolution's padding in the file.
constexpr int mostOfADimension = 1024;
constexpr float unlimited = std::numeric_limits<float>::infinity();
constexpr const char* transposedConvolution = "Convolution2DTransposeBias";

/// The libraries may read a little beyond the end of what they are given.
constexpr std::size_t spareFloats = XNN_EXTRA_BYTES / sizeof(float);

[[noreturn]] void refuse(const std::string& why)
{
    throw AppError("The person network cannot be used: " + why);
}

void require(bool condition, const char* otherwise)
{
    if (!condition)
        refuse(otherwise);
}

void check(xnn_status status, const char* what)
{
    if (status != xnn_status_success)
        refuse(std::string(what) + " was refused with status " + std::to_string(status));
}

struct Deleter {
    void operator()(xnn_subgraph_t graph) const { xnn_delete_subgraph(graph); }
    void operator()(xnn_runtime_t runtime) const { xnn_delete_runtime(runtime); }
};
using GraphPointer = std::unique_ptr<xnn_subgraph, Deleter>;
using RuntimePointer = std::unique_ptr<xnn_runtime, Deleter>;

GraphPointer makeGraph()
{
    constexpr std::uint32_t externalValues = 2; // the picture and the mask
    xnn_subgraph_t graph = nullptr;
    check(xnn_create_subgraph(externalValues, 0, &graph), "A network");
    return GraphPointer(graph);
}

float widened(std::uint16_t half)
{
    constexpr int mantissaBits = 10;
    constexpr int mantissaGrowth = 23 - mantissaBits;
    constexpr std::uint32_t exponentGrowth = (127 - 15) << 23;
    const std::uint32_t sign = static_cast<std::uint32_t>(half & 0x8000) << 16;
    const std::uint32_t magnitude = half & 0x7FFF;
    const float absolute = magnitude < (1 << mantissaBits) ? static_cast<float>(magnitude) * 0x1p-24F // no leading one
                                                           : std::bit_cast<float>((magnitude << mantissaGrowth) + exponentGrowth);
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(absolute) | sign);
}

/// Batch, height, width and channels; a vector has only the last.
using Shape = std::array<int, 4>;

std::size_t count(const Shape& shape)
{
    std::size_t product = 1;
    for (const int size : shape)
        product *= static_cast<std::size_t>(size);
    return product;
}

using Weights = std::map<int, std::vector<float>>; // by tensor

/// Translates the file's network operator by operator. The weights must live as long as what is made of the graph.
class Translation {
public:
    Translation(std::span<const std::byte> file, Weights& weights);

    Shape inputShape() const { return shapeOf(m_graph->inputs()->Get(0)); }
    Shape outputShape() const { return shapeOf(m_graph->outputs()->Get(0)); }
    xnn_subgraph_t graph() { return m_translated.get(); }

private:
    void readModel(std::span<const std::byte> file);
    const tflite::Tensor& tensor(int index) const;
    Shape shapeOf(int tensor) const;
    std::uint32_t define(int tensor, const float* data, std::uint32_t externalID, std::uint32_t flags);
    std::uint32_t value(int tensor);
    void widen(int from, int to);

    void add(const tflite::Operator& step);
    void addConvolution(const tflite::Operator& step, Operation kind);
    void addTransposedConvolution(const tflite::Operator& step);
    const tflite::Convolution& convolutionOf(const tflite::Operator& step);

    flatbuffers::Verifier m_verifier;
    const tflite::Model* m_model = nullptr;
    const tflite::Graph* m_graph = nullptr;
    Weights& m_weights;
    GraphPointer m_translated = makeGraph();
    std::map<int, std::uint32_t> m_values; ///< By tensor.
};

Translation::Translation(std::span<const std::byte> file, Weights& weights)
    : m_verifier(reinterpret_cast<const std::uint8_t*>(file.data()), file.size())
    , m_weights(weights)
{
    readModel(file);
    const int input = m_graph->inputs()->Get(0);
    const int output = m_graph->outputs()->Get(0);
    m_values[input] = define(input, nullptr, 0, XNN_VALUE_FLAG_EXTERNAL_INPUT);
    m_values[output] = define(output, nullptr, 1, XNN_VALUE_FLAG_EXTERNAL_OUTPUT);
    for (const tflite::Operator* step : *m_graph->operators())
        add(*step);
}

void Translation::readModel(std::span<const std::byte> file)
{
    require(tflite::VerifyModelBuffer(m_verifier), "The file is damaged or of another kind");
    m_model = tflite::GetModel(file.data());
    require(m_model->operator_codes() && m_model->buffers() && m_model->graphs() && m_model->graphs()->size() == 1,
        "The file does not hold one network");
    m_graph = m_model->graphs()->Get(0);
    const auto isOne = [](const flatbuffers::Vector<int>* list) { return list && list->size() == 1; };
    require(m_graph->tensors() && m_graph->operators() && isOne(m_graph->inputs()) && isOne(m_graph->outputs()),
        "It does not make one mask of one picture");
    const Shape in = inputShape();
    const Shape out = outputShape();
    require(in[0] == 1 && in[3] == 3 && out == Shape{ 1, in[1], in[2], 1 }, "It does not make one mask of one picture");
}

const tflite::Tensor& Translation::tensor(int index) const
{
    require(index >= 0 && static_cast<std::uint32_t>(index) < m_graph->tensors()->size(), "A tensor is missing");
    return *m_graph->tensors()->Get(static_cast<std::uint32_t>(index));
}

Shape Translation::shapeOf(int index) const
{
    const auto* sizes = tensor(index).shape();
    Shape shape{ 1, 1, 1, 1 };
    if (!sizes || sizes->size() == 0 || sizes->size() > shape.size())
        refuse("A tensor has no shape");
    std::ranges::copy(*sizes, shape.end() - sizes->size());
    require(std::ranges::all_of(shape, [](int size) { return size >= 1 && size <= mostOfADimension; }), "A tensor is too large");
    return shape;
}

std::uint32_t Translation::define(int index, const float* data, std::uint32_t externalID, std::uint32_t flags)
{
    const Shape shape = shapeOf(index);
    const std::vector<std::size_t> sizes(shape.end() - tensor(index).shape()->size(), shape.end());
    std::uint32_t id = XNN_INVALID_VALUE_ID;
    check(xnn_define_tensor_value(m_translated.get(), xnn_datatype_fp32, sizes.size(), sizes.data(), data, externalID, flags, &id),
        "A tensor");
    return id;
}

std::uint32_t Translation::value(int index)
{
    if (const auto known = m_values.find(index); known != m_values.end())
        return known->second;
    const auto weights = m_weights.find(index);
    const float* data = weights == m_weights.end() ? nullptr : weights->second.data();
    return m_values[index] = define(index, data, XNN_INVALID_VALUE_ID, 0);
}

/// The weights are stored as halves, and each is widened by a step of the network before it is used.
void Translation::widen(int from, int to)
{
    const tflite::Tensor& stored = tensor(from);
    require(stored.type() == halfFloats && stored.buffer() < m_model->buffers()->size(), "A weight is not stored as half floats");
    const auto* bytes = m_model->buffers()->Get(stored.buffer())->data();
    const std::size_t wanted = count(shapeOf(to));
    if (!bytes || bytes->size() != wanted * sizeof(std::uint16_t))
        refuse("A weight has another size than its shape");
    std::vector<float>& floats = m_weights[to];
    floats.resize(wanted + spareFloats);
    for (std::size_t i = 0; i < wanted; ++i) {
        std::uint16_t half = 0;
        std::memcpy(&half, bytes->data() + i * sizeof half, sizeof half);
        floats[i] = widened(half);
    }
}

void Translation::add(const tflite::Operator& step)
{
    require(step.code_index() < m_model->operator_codes()->size() && step.inputs() && step.outputs() && step.outputs()->size() == 1,
        "A step is incomplete");
    const auto* code = m_model->operator_codes()->Get(step.code_index());
    const auto kind = static_cast<Operation>(std::max<int>(code->old_code(), code->code()));
    const auto input = [&](std::uint32_t index) {
        require(index < step.inputs()->size(), "A step has too few inputs");
        return value(step.inputs()->Get(index));
    };
    const int result = step.outputs()->Get(0);
    auto* graph = m_translated.get();
    switch (kind) {
    case Operation::Dequantize:
        require(step.inputs()->size() == 1, "A step has too few inputs");
        return widen(step.inputs()->Get(0), result);
    case Operation::Convolution:
    case Operation::DepthwiseConvolution:
        return addConvolution(step, kind);
    case Operation::Custom:
        require(code->custom_code() && code->custom_code()->str() == transposedConvolution, "A step is unknown");
        return addTransposedConvolution(step);
    case Operation::Add:
        return check(xnn_define_add2(graph, -unlimited, unlimited, input(0), input(1), value(result), 0), "An addition");
    case Operation::Multiply:
        return check(xnn_define_multiply2(graph, -unlimited, unlimited, input(0), input(1), value(result), 0), "A multiplication");
    case Operation::Rectify:
        return check(xnn_define_clamp(graph, 0, unlimited, input(0), value(result), 0), "A rectifier");
    case Operation::HardSwish:
        return check(xnn_define_hardswish(graph, input(0), value(result), 0), "A hard swish");
    case Operation::Sigmoid:
        return check(xnn_define_sigmoid(graph, input(0), value(result), 0), "A sigmoid");
    case Operation::AveragePool:
    case Operation::Mean:
        require(shapeOf(result)[1] == 1 && shapeOf(result)[2] == 1, "A mean is not of the whole picture");
        return check(xnn_define_global_average_pooling_2d(graph, -unlimited, unlimited, input(0), value(result), 0), "A mean");
    case Operation::Resize: {
        const Shape to = shapeOf(result);
        return check(xnn_define_static_resize_bilinear_2d(
                         graph, static_cast<std::size_t>(to[1]), static_cast<std::size_t>(to[2]), input(0), value(result), 0),
            "A change of size");
    }
    }
    refuse("A step is unknown");
}

const tflite::Convolution& Translation::convolutionOf(const tflite::Operator& step)
{
    const auto* options = reinterpret_cast<const tflite::Convolution*>(step.options());
    if (!options || !options->Verify(m_verifier))
        refuse("A convolution has no options");
    return *options;
}

void Translation::addConvolution(const tflite::Operator& step, Operation kind)
{
    require(step.inputs()->size() == 3, "A convolution is incomplete");
    const int weights = step.inputs()->Get(1);
    const Shape kernel = shapeOf(weights);
    const auto sizes = [](int size) { return static_cast<std::uint32_t>(size); };
    const tflite::Convolution& options = convolutionOf(step);
    require(options.stride_across() >= 1 && options.stride_down() >= 1, "A convolution has no stride");
    const std::uint32_t flags = options.padding() == samePadding ? XNN_FLAG_TENSORFLOW_SAME_PADDING : 0;
    const auto from = value(step.inputs()->Get(0));
    const auto kernelValue = value(weights);
    const auto bias = value(step.inputs()->Get(2));
    const auto to = value(step.outputs()->Get(0));
    const auto status = kind == Operation::Convolution
        ? xnn_define_convolution_2d(m_translated.get(), 0, 0, 0, 0, sizes(kernel[1]), sizes(kernel[2]),
            sizes(options.stride_down()), sizes(options.stride_across()), 1, 1, 1, static_cast<std::size_t>(kernel[3]),
            static_cast<std::size_t>(kernel[0]), -unlimited, unlimited, from, kernelValue, bias, to, flags)
        : xnn_define_depthwise_convolution_2d(m_translated.get(), 0, 0, 0, 0, sizes(kernel[1]), sizes(kernel[2]),
            sizes(options.stride_down()), sizes(options.stride_across()), 1, 1, 1, static_cast<std::size_t>(kernel[3]), -unlimited,
            unlimited, from, kernelValue, bias, to, flags);
    check(status, "A convolution");
}

void Translation::addTransposedConvolution(const tflite::Operator& step)
{
    struct Options {
        std::int32_t padding;
        std::int32_t strideAcross;
        std::int32_t strideDown;
    } options{};
    const auto* given = step.custom_options();
    if (step.inputs()->size() != 3 || !given || given->size() != sizeof options)
        refuse("A transposed convolution is incomplete");
    std::memcpy(&options, given->data(), sizeof options);
    const int weights = step.inputs()->Get(1);
    const Shape kernel = shapeOf(weights);
    require(kernel[1] == options.strideDown && kernel[2] == options.strideAcross, "A transposed convolution overlaps");
    const auto height = static_cast<std::uint32_t>(kernel[1]);
    const auto width = static_cast<std::uint32_t>(kernel[2]);
    const auto from = value(step.inputs()->Get(0));
    const auto kernelValue = value(weights);
    const auto bias = value(step.inputs()->Get(2));
    check(xnn_define_deconvolution_2d(m_translated.get(), 0, 0, 0, 0, 0, 0, height, width, height, width, 1, 1, 1,
              static_cast<std::size_t>(kernel[3]), static_cast<std::size_t>(kernel[0]), -unlimited, unlimited, from, kernelValue,
              bias, value(step.outputs()->Get(0)), 0),
        "A transposed convolution");
}

} // namespace

struct PersonNetwork::State {
    int width = 0;
    int height = 0;
    Weights weights;
    std::vector<float> input;
    std::vector<float> output;
    RuntimePointer runtime;
};

PersonNetwork::PersonNetwork(std::span<const std::byte> file)
    : m_state(std::make_unique<State>())
{
    State& state = *m_state;
    check(xnn_initialize(nullptr), "This processor");
    Translation translation(file, state.weights);
    state.height = translation.inputShape()[1];
    state.width = translation.inputShape()[2];
    state.input.resize(count(translation.inputShape()) + spareFloats);
    state.output.resize(count(translation.outputShape()) + spareFloats);
    xnn_runtime_t runtime = nullptr;
    check(xnn_create_runtime_v2(translation.graph(), nullptr, 0, &runtime), "The network");
    state.runtime.reset(runtime);
    const std::array<xnn_external_value, 2> values{ { { 0, state.input.data() }, { 1, state.output.data() } } };
    check(xnn_setup_runtime(runtime, values.size(), values.data()), "The network's memory");
}

PersonNetwork::~PersonNetwork() = default;

int PersonNetwork::width() const
{
    return m_state->width;
}

int PersonNetwork::height() const
{
    return m_state->height;
}

std::span<float> PersonNetwork::input()
{
    return { m_state->input.data(), m_state->input.size() - spareFloats };
}

void PersonNetwork::run()
{
    check(xnn_invoke_runtime(m_state->runtime.get()), "A picture");
}

std::span<const float> PersonNetwork::mask() const
{
    return { m_state->output.data(), m_state->output.size() - spareFloats };
}

} // namespace vantry
