package zoren.cli;

/** How many pixels lie on a metre, along a picture's rows and columns. */
final class Density {
    private static final double INCH = 0.0254; // metres

    final int x;
    final int y;

    private Density(int x, int y) {
        this.x = x;
        this.y = y;
    }

    static Density of(double x, double y) {
        return new Density((int) Math.round(x), (int) Math.round(y));
    }

    static Density perInch(double x, double y) {
        return of(x / INCH, y / INCH);
    }

    /** Returns the density of the picture turned on its side. */
    Density turned() {
        return new Density(y, x);
    }

    /** Returns the pixels an inch. */
    static int perInch(int perMetre) {
        return (int) Math.round(perMetre * INCH);
    }
}
