#include "plugins/ruby/nativeclasses.h"

#include <QBuffer>
#include <QImage>
#include <QMap>

#include "interpreter/generic/imageobjects.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/nativefunctions.h"

namespace Tamrix::RubyPlugin {

namespace {

struct NativeClass {
    void* super = nullptr;
    VALUE rubyClass = Qnil;
};

/// By type identifier. The classes live for the process, as constants that Ruby knows.
QMap<void*, NativeClass>& classes() {
    static auto* const s_instance = new QMap<void*, NativeClass>;
    return *s_instance;
}

VALUE s_nativeObject = Qnil;

VALUE rubyClassOf(void* typeId) {
    while (typeId) {
        const auto found = classes().constFind(typeId);
        if (found == classes().constEnd())
            break;
        if (!NIL_P(found->rubyClass))
            return found->rubyClass;
        typeId = found->super;
    }
    return s_nativeObject;
}

// What images have in Ruby beyond their description

const QImage& imageOf(VALUE self) {
    return staticPointerCast<ImageScriptObject>(Holder<NativeScriptObject>::unwrap(self))->image;
}

/// Equal pixels, whatever form they are kept in.
VALUE imageEqual(VALUE self, VALUE other) {
    const SharedPtr<NativeScriptObject> native = Holder<NativeScriptObject>::unwrap(other);
    const bool isImage =
        native && isNativeTypeDerivedFrom(native->typeId(), ImageScriptObject::staticTypeId());
    return isImage && arePixelsEqual(imageOf(self), imageOf(other)) ? Qtrue : Qfalse;
}

VALUE imageInspect(VALUE self) {
    return enterNative([=] {
        const QImage& image = imageOf(self);
        return toRuby(QStringLiteral("#<Image %1x%2>")
                          .arg(QString::number(image.width()), QString::number(image.height())));
    });
}

/// The bytes of a PNG file.
VALUE imageToPng(VALUE self) {
    return enterNative([=] {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (!imageOf(self).save(&buffer, "PNG"))
            throwException(rb_eArgError, "The image has no pixels to be written");
        const char* const data = bytes.constData();
        const long size = bytes.size();
        return protect([=] { return rb_str_new(data, size); });
    });
}

void addImageMethods(VALUE rubyClass) {
    rb_define_method(rubyClass, "==", imageEqual, 1);
    rb_define_method(rubyClass, "inspect", imageInspect, 0);
    rb_define_method(rubyClass, "to_png", imageToPng, 0);
}

void defineMembers(VALUE rubyClass, const ScriptContext& context, const QString& name,
                   const NativeScriptType& type) {
    defineSingleton(rubyClass, "new",
                    entryOf(NativeFunction(context, {name, {}, {}, {}, {}}, type.constructor())));
    const auto methods = type.methods();
    for (auto each = methods.cbegin(); each != methods.cend(); ++each)
        defineMethod(rubyClass, each.key(),
                     entryOf(NativeFunction(context,
                                            {each.key(), name, each->requiredParameters,
                                             each->optionalParameters, each->description},
                                            each->function)));
    const auto staticMethods = type.staticMethods();
    for (auto each = staticMethods.cbegin(); each != staticMethods.cend(); ++each)
        defineSingleton(rubyClass, each.key(),
                        entryOf(NativeFunction(context,
                                               {each.key(), name, each->requiredParameters,
                                                each->optionalParameters, each->description},
                                               each->function)));
    const auto properties = type.properties();
    for (auto each = properties.cbegin(); each != properties.cend(); ++each) {
        const NativeSignature signature{each.key(), name, {}, {}, {}};
        defineMethod(rubyClass, each.key(),
                     entryOf(NativeFunction(context, signature, each->getter)));
        if (each->setter)
            defineMethod(rubyClass, each.key() + "=",
                         entryOf(NativeFunction(context, signature, each->setter)));
    }
    const auto staticProperties = type.staticProperties();
    for (auto each = staticProperties.cbegin(); each != staticProperties.cend(); ++each) {
        const NativeSignature signature{each.key(), name, {}, {}, {}};
        constexpr auto kind = NativeFunction::Kind::StaticAccessor;
        defineSingleton(rubyClass, each.key(),
                        entryOf(NativeFunction(context, signature, each->getter, kind)));
        if (each->setter)
            defineSingleton(rubyClass, each.key() + "=",
                            entryOf(NativeFunction(context, signature, each->setter, kind)));
    }
}

}  // namespace

void defineNativeBase(VALUE module) {
    s_nativeObject = rb_define_class_under(module, "NativeObject", rb_cObject);
    rb_gc_register_address(&s_nativeObject);
    rb_undef_alloc_func(s_nativeObject);
}

VALUE defineNativeClass(VALUE module, const ScriptContext& context, const QString& name,
                        void* typeId, const NativeScriptType& type) {
    NativeClass& entry = classes()[typeId];
    entry.super = type.super();
    const QString constant = name.left(1).toUpper() + name.mid(1);
    entry.rubyClass =
        rb_define_class_under(module, constant.toUtf8().constData(),
                              type.super() ? rubyClassOf(type.super()) : s_nativeObject);
    defineMembers(entry.rubyClass, context, name, type);
    if (typeId == ImageScriptObject::staticTypeId())
        addImageMethods(entry.rubyClass);
    return entry.rubyClass;
}

VALUE wrapNative(const SharedPtr<NativeScriptObject>& object) {
    return Holder<NativeScriptObject>::wrap(
        object, object ? rubyClassOf(object->typeId()) : s_nativeObject);
}

bool isNativeTypeDerivedFrom(void* typeId, void* wanted) {
    while (typeId && typeId != wanted)
        typeId = classes().value(typeId).super;
    return typeId && typeId == wanted;
}

}  // namespace Tamrix::RubyPlugin
