#include "plugins/ruby/nativeclasses.h"

#include <QBuffer>
#include <QImage>

#include "interpreter/generic/imageobjects.h"
#include "interpreter/language/nativeclasses.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/nativefunctions.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Constants that Ruby knows.
using Classes = NativeClasses<VALUE>;

VALUE s_nativeObject = Qnil;

VALUE rubyClassOf(void* typeId) {
    const VALUE* const made = Classes::self().find(typeId);
    return made ? *made : s_nativeObject;
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
        return toRuby(bytes);
    });
}

void addImageMethods(VALUE rubyClass) {
    rb_define_method(rubyClass, "==", imageEqual, 1);
    rb_define_method(rubyClass, "inspect", imageInspect, 0);
    rb_define_method(rubyClass, "to_png", imageToPng, 0);
}

void defineMembers(VALUE rubyClass, const std::vector<NativeMember>& members) {
    for (const NativeMember& member : members) {
        const auto define = member.isStatic() ? defineSingleton : defineMethod;
        define(rubyClass, member.name, entryOf(member.function));
        if (member.setter)
            define(rubyClass, member.name + "=", entryOf(*member.setter));
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
    const QString constant = name.left(1).toUpper() + name.mid(1);
    const VALUE rubyClass =
        rb_define_class_under(module, constant.toUtf8().constData(), rubyClassOf(type.super()));
    Classes::self().add(typeId, type.super(), rubyClass);
    defineSingleton(rubyClass, "new", entryOf(nativeConstructor(context, name, type)));
    defineMembers(rubyClass, nativeMembers(context, name, type));
    if (typeId == ImageScriptObject::staticTypeId())
        addImageMethods(rubyClass);
    return rubyClass;
}

VALUE wrapNative(const SharedPtr<NativeScriptObject>& object) {
    return Holder<NativeScriptObject>::wrap(
        object, object ? rubyClassOf(object->typeId()) : s_nativeObject);
}

}  // namespace Tamrix::RubyPlugin
