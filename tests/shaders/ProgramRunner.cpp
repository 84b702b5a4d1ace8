#include "shaders/ProgramRunner.h"

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

#include "shaders/Programs.h"

namespace keladjust::test {

namespace {

enum Attribute : GLuint { position, coordinate };

std::string infoLog(GLuint object, PFNGLGETSHADERINFOLOGPROC read) {
    std::array<char, 4096> text{};
    read(object, static_cast<GLsizei>(text.size() - 1), nullptr, text.data());
    return text.data();
}

void attach(GLuint program, GLenum kind, const char* text) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (!compiled) throw std::runtime_error(infoLog(shader, glGetShaderInfoLog));
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

GLuint linkedProgram(const std::string& fragmentProgram) {
    const GLuint program = glCreateProgram();
    attach(program, GL_VERTEX_SHADER, shaders::defaultVertexGlsl);
    attach(program, GL_FRAGMENT_SHADER, fragmentProgram.c_str());
    glBindAttribLocation(program, position, "vertex");
    glBindAttribLocation(program, coordinate, "uv0");
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (!linked) throw std::runtime_error(infoLog(program, glGetProgramInfoLog));
    return program;
}

GLuint texture(int width, int height, const void* pixels) {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    return name;
}

void set(GLint location, int value) {
    glUniform1i(location, value);
}
void set(GLint location, float value) {
    glUniform1f(location, value);
}

}  // namespace

struct ProgramRunner::Context {
    Context() : display(eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr)) {
        eglInitialize(display, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_API);
        context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
        if (!eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
            throw std::runtime_error(
                "no OpenGL without a display (Debian package libgl1-mesa-dri)");
        }
    }
    ~Context() { eglTerminate(display); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    GLuint program(const std::string& fragmentProgram) {
        const auto known = programs.find(fragmentProgram);
        if (known != programs.end()) return known->second;
        return programs[fragmentProgram] = linkedProgram(fragmentProgram);
    }

    EGLDisplay display;
    EGLContext context = EGL_NO_CONTEXT;
    std::map<std::string, GLuint> programs;  // by fragment text
};

ProgramRunner::ProgramRunner() : context_(std::make_unique<Context>()) {}
ProgramRunner::~ProgramRunner() = default;

gpu::Texture ProgramRunner::render(const std::string& fragmentProgram,
                                   const ProgramSettings& settings, const gpu::Texture& picture) {
    const int width = picture.width();
    const int height = picture.height();
    const GLuint target = texture(width, height, nullptr);
    const GLuint source = texture(width, height, picture.bytes().data());
    GLuint frame = 0;
    glGenFramebuffers(1, &frame);
    glBindFramebuffer(GL_FRAMEBUFFER, frame);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
    glViewport(0, 0, width, height);

    const GLuint program = context_->program(fragmentProgram);
    glUseProgram(program);
    constexpr std::array<GLfloat, 16> untransformed{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glUniformMatrix4fv(glGetUniformLocation(program, "_worldViewProj"), 1, GL_FALSE,
                       untransformed.data());
    for (const auto& [name, value] : settings) {
        const GLint location = glGetUniformLocation(program, name.c_str());
        if (location < 0) throw std::runtime_error("no setting " + name);
        std::visit([location](auto v) { set(location, v); }, value);
    }

    // The first row lies at the bottom, where OpenGL has the first row of a texture too.
    constexpr std::array<GLfloat, 8> corners{-1, -1, 1, -1, -1, 1, 1, 1};
    constexpr std::array<GLfloat, 8> coordinates{0, 0, 1, 0, 0, 1, 1, 1};
    glVertexAttribPointer(position, 2, GL_FLOAT, GL_FALSE, 0, corners.data());
    glVertexAttribPointer(coordinate, 2, GL_FLOAT, GL_FALSE, 0, coordinates.data());
    glEnableVertexAttribArray(position);
    glEnableVertexAttribArray(coordinate);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);

    std::vector<std::uint8_t> bytes(picture.bytes().size());
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    const GLenum error = glGetError();
    glDeleteFramebuffers(1, &frame);
    glDeleteTextures(1, &source);
    glDeleteTextures(1, &target);
    if (error != GL_NO_ERROR) throw std::runtime_error("OpenGL error " + std::to_string(error));
    return {std::move(bytes), width, height};
}

}  // namespace keladjust::test
