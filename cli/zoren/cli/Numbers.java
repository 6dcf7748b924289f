package zoren.cli;

import java.math.BigInteger;
import picocli.CommandLine.ITypeConverter;
import picocli.CommandLine.TypeConversionException;

/** Numbers as people write them: decimal digits, without what else Java's own parsers take. */
final class Numbers {
    private Numbers() {}

    /** Returns the whole number; any other text is wrong usage. */
    static BigInteger integer(String text) {
        if (!text.matches("-?[0-9]+")) {
            throw new TypeConversionException("'" + text + "' is not a whole number");
        }
        return new BigInteger(text);
    }

    /** Returns the decimal number, 1e-9 among them; any other text is wrong usage. */
    static float decimal(String text) {
        if (!text.matches("-?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][-+]?[0-9]+)?")) {
            throw new TypeConversionException("'" + text + "' is not a decimal number");
        }
        return Float.parseFloat(text);
    }

    /** Takes whole numbers of one range. */
    abstract static class Range implements ITypeConverter<Integer> {
        private final BigInteger least;
        private final BigInteger most;

        Range(int least, int most) {
            this.least = BigInteger.valueOf(least);
            this.most = BigInteger.valueOf(most);
        }

        @Override
        public Integer convert(String text) {
            final BigInteger number = integer(text);
            if (number.compareTo(least) < 0 || number.compareTo(most) > 0) {
                throw new TypeConversionException(
                        "must be from " + least + " to " + most + ", not " + text);
            }
            return number.intValue();
        }
    }

    /** A share of the whole. */
    static final class Percent extends Range {
        Percent() {
            super(0, 100);
        }
    }

    /** A quality of JPEG. */
    static final class Quality extends Range {
        Quality() {
            super(1, 100);
        }
    }

    /** A count of threads. */
    static final class Jobs extends Range {
        Jobs() {
            super(1, 1024);
        }
    }

    /** A count of pixels, at most what the largest bitmap holds. */
    static final class Pixels extends Range {
        Pixels() {
            super(1, Integer.MAX_VALUE / 4);
        }
    }
}
