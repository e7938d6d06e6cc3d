# SPDX-License-Identifier: Apache-2.0
# Takes the values out of a shader, so that shaders which differ in nothing else have
# one source: the values of the arguments and the numbers in main become
# members of a block
#
#   layout(std140) uniform mrValues { ARGUMENT...; vec4 mrValue[N]; };
#
# and a list of numbers in the layout of that block.
#
# What stays as it is: whole numbers, since they count and index; 0.0 and 1.0; numbers
# that must be known to the compiler; all that is not in main.
# Comments and empty lines go, as some of them quote values.

package MrayValues;

use strict;
use warnings;

# So many numbers hold the blocks of all drivers.
my $most = 4096;

my %components = (float => 1, vec2 => 2, vec3 => 3, vec4 => 4);
my @member = map { ".$_" } qw(x y z w);
my $number = qr/(?<![\w.])(?:(?:\d+\.\d*|\.\d+)(?:[eE][-+]?\d+)?|\d+[eE][-+]?\d+)(?=[fF]?(?![\w.]))[fF]?/;
# Templates write these, not the formats of values; what compilers know about them is worth more.
my %plain = ('0.0' => 1, '1.0' => 1);
# What a minus stands behind that belongs to the number: so a value keeps its place when
# it goes below 0.
my $opens = qr{[-(,=*/?:<>+&|\{!]\s*|\breturn\s+};

# Takes what MrayFilter::make gives, and a function that makes the text of a shader into
# that of what is to be seen (MrayOptions::viewed), which may put statements behind it.
# Gives the source and a reference to the numbers; nothing for a shader whose lines
# cannot be told from each other.
sub taken_out {
	my ($made, $viewed) = @_;
	my $self = { block => [], numbers => [], values => [], room => $most, const => 0, comment => 0, last => 0 };
	members($self, $made->{arguments}) if $made->{type} eq 'surface';
	my ($place, @lines);
	for my $record (@{ $made->{source} }) {
		my ($text, undef, $kind, $argument, $in_main) = @$record;
		next if defined $kind && $kind eq 'help';
		return if substr($text, -1) eq '\\';
		$place = @lines if !defined $place && ($in_main || defined $kind);
		$self->{last} = 1 if $text =~ /^void\s+main\s*\(/;
		next if $argument && $self->{inside}{ $argument->{name} };
		$text = uncommented($self, $text);
		next if $text !~ /\S/;
		# The last main of a module calls it with the arguments' values.
		$text = replaced($self, $text) if $in_main || $self->{last} && !defined $kind;
		push @lines, $text;
	}
	return if !defined $place || $self->{comment};
	my $text = $viewed->(join '', map { "$_\n" } @lines);
	my @shown = split /\n/, $text;
	# What stands behind the shader's own lines.
	$_ = replaced($self, $_) for @shown[@lines .. $#shown];
	splice @shown, $place, 0, block($self);
	return (join('', map { "$_\n" } @shown), numbers($self));
}

# Puts arguments into the block, if they are made of plain numbers.
sub members {
	my ($self, $arguments) = @_;
	for my $argument (@$arguments) {
		my $count = $components{ $argument->{glsl} } or next;
		my $numbers = MrayShader::numbers_of($argument) or next;
		my $align = $count == 3 ? 4 : $count;
		my $at = @{ $self->{numbers} };
		my $gap = -$at % $align;
		last if $at + $gap + $count > $most;
		push @{ $self->{numbers} }, (0) x $gap, @$numbers;
		push @{ $self->{block} }, "$argument->{glsl} $argument->{name};";
		$self->{inside}{ $argument->{name} } = 1;
	}
	push @{ $self->{numbers} }, (0) x (-@{ $self->{numbers} } % 4);
	$self->{room} = $most - @{ $self->{numbers} };
}

sub block {
	my ($self) = @_;
	my $count = @{ $self->{values} };
	my @lines = @{ $self->{block} };
	push @lines, 'vec4 mrValue[' . int(($count + 3) / 4) . '];' if $count;
	return @lines ? ('layout(std140) uniform mrValues {', @lines, '};') : ();
}

sub numbers {
	my ($self) = @_;
	return [@{ $self->{numbers} }, @{ $self->{values} }];
}

# A line without its comments.
sub uncommented {
	my ($self, $text) = @_;
	return $text if !$self->{comment} && index($text, '/') < 0;
	my $code = '';
	while ($text ne '') {
		if ($self->{comment}) {
			$text =~ s{^.*?\*/}{ }s or last;
			$self->{comment} = 0;
		} elsif ($text =~ s{^([^/]+|/(?![/*]))}{}) {
			$code .= $1;
		} else {
			last if $text =~ m{^//};
			$text =~ s{^/\*}{};
			$self->{comment} = 1;
		}
	}
	$code =~ s/\s+\z//;
	return $code;
}

# A line with members of the block in the place of its numbers.
sub replaced {
	my ($self, $text) = @_;
	return $text if index($text, '.') < 0 && $text !~ /\d[eE]/ && !$self->{const} && index($text, 'const') < 0;
	return $text if $text =~ /^\s*#/;
	# From "const" to the end of its statement, and between square brackets, numbers are the compiler's.
	if ($self->{const} || $text =~ /\bconst\b/ || index($text, '[') >= 0) {
		my $out = '';
		while ($text =~ /\G(?:((?:(?!\bconst\b)[^\[;])+)|(const\b[^;]*;?)|(\[[^\]]*\]?)|(.))/gs) {
			my ($code, $const, $index, $one) = ($1, $2, $3, $4);
			if ($self->{const}) {
				my $all = $code // $const // $index // $one;
				$self->{const} = 0 if $all =~ /;/;
				$out .= $all;
			} elsif (defined $const) {
				$self->{const} = $const !~ /;/;
				$out .= $const;
			} else {
				$out .= defined $code ? put_in($self, $code) : $index // $one;
			}
		}
		return $out;
	}
	return put_in($self, $text);
}

sub put_in {
	my ($self, $code) = @_;
	my $values = $self->{values};
	$code =~ s/(?:($opens)(-))?($number)/
		my ($before, $value) = ($1 \/\/ '', ($2 \/\/ '') . $3);
		@$values < $self->{room} && !$plain{$3} ? $before . member($values, $value) : $before . $value/gex;
	return $code;
}

sub member {
	my ($values, $value) = @_;
	$value =~ s/[fF]\z//;
	push @$values, $value;
	return 'mrValue[' . ($#$values >> 2) . ']' . $member[$#$values & 3];
}

1;
