// What Qt Core does.

#include <QByteArray>
#include <QDataStream>
#include <QSharedPointer>
#include <QString>
#include <QVector>
#include <memory>

#include "Duty.h"

namespace {

const RegisterDuty text("text", "QByteArray", [](unsigned int size) -> Work {
    return [source = Letters(size)](unsigned int times) {
        for (; times > 0; --times) {
            const QByteArray made(Opaque(source.c_str()));
            Keep(made);
        }
    };
});

const RegisterDuty textCopy("text_copy", "QByteArray", [](unsigned int size) -> Work {
    return [source = QByteArray(Letters(size).c_str())](unsigned int times) {
        for (; times > 0; --times) {
            QByteArray copy(*Opaque(&source));
            copy.detach();
            Keep(copy);
        }
    };
});

const RegisterDuty appendChar("append_char", "QByteArray", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            QByteArray string;
            for (unsigned int i = 0; i < size; ++i) {
                string.append('x');
                Keep(string);
            }
        }
    };
});

const RegisterDuty numberOut("number_out", "QByteArray", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        QByteArray string;
        for (; times > 0; --times) {
            int number = firstNumber;
            for (unsigned int i = 0; i < size; ++i) {
                string.setNum(++number);
                Keep(string);
            }
        }
    };
});

const RegisterDuty item("item", "QDataStream", [](unsigned int size) -> Work {
    return [size, source = QByteArray(Letters(20).c_str())](unsigned int times) {
        for (; times > 0; --times) {
            QByteArray message;
            QDataStream out(&message, QIODevice::WriteOnly);
            for (unsigned int i = 0; i < size; ++i) out << qint32(firstNumber) << source;
            QDataStream in(message);
            for (unsigned int i = 0; i < size; ++i) {
                qint32 number;
                QByteArray read;
                in >> number >> read;
                Keep(number);
                Keep(read);
            }
        }
    };
});

const RegisterDuty append("list_append", "QVector", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        static int pointee;
        for (; times > 0; --times) {
            QVector<void*> list;
            for (unsigned int i = 0; i < size; ++i) list.append(&pointee);
            Keep(list);
        }
    };
});

struct Plain {
    virtual ~Plain() = default;
    int value = 0;
};

const RegisterDuty object("object", "QSharedPointer", [](unsigned int size) -> Work {
    if (size != 1) return Work();
    return [](unsigned int times) {
        for (; times > 0; --times) Keep(QSharedPointer<Plain>::create());
    };
});

}  // namespace
