#pragma once

class KVTMaterial;
class Shader;

// A loaded shader coupled with the material of what it draws: using it applies the
// material, then the program. The shader belongs to the shader pool.
class ShaderInstance {
public:
    ShaderInstance() = default;
    explicit ShaderInstance(Shader* s) : shader(s) {}
    virtual ~ShaderInstance() = default;

    virtual void use(KVTMaterial* material);
    virtual void release();

    Shader* getShader() const { return shader; }

private:
    Shader* shader = nullptr;
};
