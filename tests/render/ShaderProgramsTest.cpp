// Shader programs: building, default uniforms, log lines and failures.
#include "render/ShaderPrograms.h"

#include <GL/glew.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "render/ShaderSources.h"
#include "support/BareContext.h"
#include "support/TestFolder.h"

namespace {

using testing::ElementsAre;

/// The log lines since construction, without their time stamps.
class LogWatch {
public:
    LogWatch() : m_start((TestFolder(), ReadLog().size())) {}
    [[nodiscard]] std::vector<std::string> Lines() const {
        std::istringstream text(ReadLog().substr(m_start));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            for (std::size_t at = 0; (at = line.find('[', at)) != std::string::npos;) {
                const std::size_t end = line.find("] <", at);
                if (end == std::string::npos) break;
                line.erase(at, end + 2 - at);
            }
            lines.push_back(line);
        }
        return lines;
    }

private:
    std::size_t m_start;
};

const std::string kGoodVertex = "#version 330 compatibility\nvoid main() { gl_Position = gl_Vertex; }\n";
const std::string kGoodFragment = "#version 330 compatibility\nvoid main() { gl_FragColor = vec4(1.0); }\n";
const std::string kBroken = "#version 330 compatibility\nvoid main() { nonsense }\n";
const std::string kVertexOut =
    "#version 330 compatibility\nout vec4 a;\nvoid main() { a = gl_Position = gl_Vertex; }\n";
const std::string kFragmentIn =
    "#version 330 compatibility\nin mat3 a;\nvoid main() { gl_FragColor = vec4(a[0], 1.0); }\n";

TEST(ShaderPrograms, AllEightBuildInTheirOrderAndLogTwoLinesEach) {
    const BareContext client;
    const LogWatch log;
    std::vector<std::string> expected;
    for (const char* name :
         {"perpixel", "texperpixel", "create mask", "use mask", "depth", "quad", "shadow", "freeFloatingPoints"}) {
        expected.push_back(std::string("<INFO>: Compile ") + name + " shaders.");
        expected.push_back(std::string("<INFO>: Build ") + name + " program.");
    }
    for (const ShaderSource& source : ShaderSources()) {
        const GLuint program = BuildProgram(source.name, source.vertex, source.fragment);
        EXPECT_EQ(glIsProgram(program), GL_TRUE) << source.name;
        GLint shaders = 0;
        glGetProgramiv(program, GL_ATTACHED_SHADERS, &shaders);
        EXPECT_EQ(shaders, 2) << source.name;
    }
    EXPECT_EQ(log.Lines(), expected);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(ShaderPrograms, EverySourceBeginsWithTheVersion) {
    for (const ShaderSource& source : ShaderSources()) {
        EXPECT_EQ(source.vertex.rfind("#version 330 compatibility\n", 0), 0u) << source.name;
        EXPECT_EQ(source.fragment.rfind("#version 330 compatibility\n", 0), 0u) << source.name;
    }
}

struct UniformDefault {
    const char* uniform;
    std::vector<float> value;
};

void ExpectUniforms(ShaderIndex index, const std::vector<UniformDefault>& defaults) {
    const ShaderSource& source = ShaderSources()[index];
    const GLuint program = BuildProgram(source.name, source.vertex, source.fragment);
    for (const auto& [uniform, value] : defaults) {
        const GLint location = glGetUniformLocation(program, uniform);
        ASSERT_GE(location, 0) << source.name << " " << uniform;
        float found[16] = {};
        glGetUniformfv(program, location, found);
        EXPECT_EQ(std::vector<float>(found, found + value.size()), value) << source.name << " " << uniform;
    }
}

TEST(ShaderPrograms, UniformsStartAtTheirDefaults) {
    const BareContext client;
    // A driver may remove uniforms that the result does not depend on.
    ExpectUniforms(kShaderPerPixel, {{"lightpos", {0, 5, 0}},
                                     {"colorAmbient", {1, 1, 1, 0.1f}},
                                     {"colorDiffuse", {0.7f, 0.7f, 0.7f, 0.7f}},
                                     {"colorSpecular", {1, 1, 1, 0.5f}},
                                     {"shininess", {100}}});
    ExpectUniforms(kShaderTexPerPixel, {{"lightpos", {0, 5, 0}},
                                        {"colorAmbient", {1, 1, 1, 0.1f}},
                                        {"colorDiffuse", {0.7f, 0.7f, 0.7f, 0.7f}},
                                        {"colorSpecular", {1, 1, 1, 0.5f}},
                                        {"shininess", {100}},
                                        {"tex", {0}}});
    ExpectUniforms(kShaderShadow, {{"lightpos", {0, 5, 0}},
                                   {"clipPlaneEquation0", {0, 0, 0, 1}},
                                   {"clipPlane0Enabled", {0}},
                                   {"colorAmbient", {0.5f, 0.5f, 0.5f, 0.1f}},
                                   {"colorDiffuse", {0.7f, 0.7f, 0.7f, 1}},
                                   {"colorSpecular", {0.7f, 0.7f, 0.7f, 0.5f}},
                                   {"shadowColor", {0, 0, 0.4f}},
                                   {"shininess", {100}}});
    ExpectUniforms(kShaderCreateMask, {{"clipPlaneEquation0", {0, 0, 0, 1}}, {"clipPlane0Enabled", {0}}});
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(ShaderPrograms, PointAttributesHaveFixedLocations) {
    const BareContext client;
    const ShaderSource& source = ShaderSources()[kShaderFreeFloatingPoints];
    const GLuint program = BuildProgram(source.name, source.vertex, source.fragment);
    EXPECT_EQ(glGetAttribLocation(program, "in_position"), 0);
    EXPECT_EQ(glGetAttribLocation(program, "in_vertexColor"), 1);
    for (const char* uniform : {"pointSize", "windowHeight", "alpha"})
        EXPECT_GE(glGetUniformLocation(program, uniform), 0) << uniform;
}

TEST(CompileShader, ReturnsZeroForABrokenSourceAndLogsTheCompilerMessage) {
    const BareContext client;
    const LogWatch log;
    EXPECT_EQ(CompileShader(kBroken, GL_FRAGMENT_SHADER), 0u);
    const std::vector<std::string> lines = log.Lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "<ERROR>: Failed to compile shader: ");
    EXPECT_EQ(lines[1].rfind("<ERROR>: ", 0), 0u);
    EXPECT_THAT(lines[1], testing::HasSubstr("error"));
}

TEST(CompileShader, ReturnsZeroForAnUnknownType) {
    const BareContext client;
    const LogWatch log;
    EXPECT_EQ(CompileShader(kGoodVertex, GL_TEXTURE_2D), 0u);
    EXPECT_THAT(log.Lines(), ElementsAre("<ERROR>: Failed to initalize shader. "));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
}

TEST(LinkProgram, ReturnsZeroOnFailureAndLogsTwoHeadersInOneLine) {
    const BareContext client;
    const GLuint vertex = CompileShader(kVertexOut, GL_VERTEX_SHADER);
    const GLuint fragment = CompileShader(kFragmentIn, GL_FRAGMENT_SHADER);
    ASSERT_NE(vertex, 0u);
    ASSERT_NE(fragment, 0u);
    const LogWatch log;
    EXPECT_EQ(LinkProgram(vertex, fragment), 0u);
    EXPECT_THAT(log.Lines(), ElementsAre("<ERROR>: Failed to link shader program. <ERROR>: "));
}

void BuildInNewContext(const std::string& vertex, const std::string& fragment) {
    const BareContext client;
    (void)BuildProgram("tested", vertex, fragment);
    std::exit(0);
}

class BuildProgramProcess : public testing::Test {
protected:
    // The default style forks, which the threads of the driver do not survive.
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(BuildProgramProcess, ReturnsWhenBothShadersCompileAndLink) {
    const LogWatch log;
    EXPECT_EXIT(BuildInNewContext(kGoodVertex, kGoodFragment), testing::ExitedWithCode(0), "");
    EXPECT_THAT(log.Lines(), ElementsAre("<INFO>: Compile tested shaders.", "<INFO>: Build tested program."));
}

TEST_F(BuildProgramProcess, EndsTheProcessForABrokenVertexShader) {
    const LogWatch log;
    EXPECT_EXIT(BuildInNewContext(kBroken, kGoodFragment), testing::ExitedWithCode(1), "");
    const std::vector<std::string> lines = log.Lines();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "<INFO>: Compile tested shaders.");
    EXPECT_EQ(lines[1], "<ERROR>: Failed to compile shader: ");
    EXPECT_EQ(lines.back(), "<ERROR>: Failed to initalize shader objects. ");
}

TEST_F(BuildProgramProcess, EndsTheProcessForABrokenFragmentShader) {
    const LogWatch log;
    EXPECT_EXIT(BuildInNewContext(kGoodVertex, kBroken), testing::ExitedWithCode(1), "");
    EXPECT_EQ(log.Lines().back(), "<ERROR>: Failed to initalize shader objects. ");
}

TEST_F(BuildProgramProcess, EndsTheProcessForShadersThatDoNotLink) {
    const LogWatch log;
    EXPECT_EXIT(BuildInNewContext(kVertexOut, kFragmentIn), testing::ExitedWithCode(1), "");
    EXPECT_THAT(log.Lines(), ElementsAre("<INFO>: Compile tested shaders.", "<INFO>: Build tested program.",
                                         "<ERROR>: Failed to link shader program. <ERROR>: ",
                                         "<ERROR>: Failed to create program. "));
}

}  // namespace
