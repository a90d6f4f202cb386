#include <QCoreApplication>

int main(int p_Count, char** p_Arguments)
{
    QCoreApplication const application(p_Count, p_Arguments);
    return 0;
}
