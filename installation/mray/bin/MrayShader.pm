# SPDX-License-Identifier: Apache-2.0
# What the scripts of this library share: reading the arginfo section and the
# render options, the types and the names of GLSL, writing files.
#
# Operations that can fail take $fail, which is given the message and does not
# return.

package MrayShader;

use strict;
use warnings;

# The types of shader that there are, the first one for want of another.
my @types = qw(surface module);

# The words that GLSL 3.30 has taken or reserved.
my %reserved = map { $_ => 'a word of GLSL' } qw(
	attribute const uniform varying layout centroid flat smooth noperspective
	break continue do for while switch case default if else in out inout
	float int void bool true false invariant discard return struct
	mat2 mat3 mat4 mat2x2 mat2x3 mat2x4 mat3x2 mat3x3 mat3x4 mat4x2 mat4x3 mat4x4
	vec2 vec3 vec4 ivec2 ivec3 ivec4 bvec2 bvec3 bvec4 uint uvec2 uvec3 uvec4
	lowp mediump highp precision patch sample subroutine
	sampler1D sampler2D sampler3D samplerCube sampler1DShadow sampler2DShadow
	samplerCubeShadow sampler1DArray sampler2DArray sampler1DArrayShadow
	sampler2DArrayShadow isampler1D isampler2D isampler3D isamplerCube
	isampler1DArray isampler2DArray usampler1D usampler2D usampler3D usamplerCube
	usampler1DArray usampler2DArray sampler2DRect sampler2DRectShadow
	isampler2DRect usampler2DRect samplerBuffer isamplerBuffer usamplerBuffer
	sampler2DMS isampler2DMS usampler2DMS sampler2DMSArray isampler2DMSArray
	usampler2DMSArray
	common partition active asm class union enum typedef template this packed
	resource goto inline noinline volatile public static extern external
	interface long short double half fixed unsigned superp input output
	hvec2 hvec3 hvec4 dvec2 dvec3 dvec4 fvec2 fvec3 fvec4 sampler3DRect filter
	image1D image2D image3D imageCube iimage1D iimage2D iimage3D iimageCube
	uimage1D uimage2D uimage3D uimageCube image1DArray image2DArray
	image1DShadow image2DShadow imageBuffer iimageBuffer uimageBuffer
	sizeof cast namespace using row_major coherent restrict readonly writeonly
	atomic_uint buffer shared precise main);
$reserved{$_} = 'a function of GLSL' for qw(
	radians degrees sin cos tan asin acos atan sinh cosh tanh asinh acosh atanh
	pow exp log exp2 log2 sqrt inversesqrt abs sign floor trunc round roundEven
	ceil fract mod modf min max clamp mix step smoothstep isnan isinf
	floatBitsToInt floatBitsToUint intBitsToFloat uintBitsToFloat
	length distance dot cross normalize faceforward reflect refract
	matrixCompMult outerProduct transpose determinant inverse
	lessThan lessThanEqual greaterThan greaterThanEqual equal notEqual any all not
	texture textureProj textureLod textureOffset texelFetch textureGrad textureSize
	dFdx dFdy fwidth noise1 noise2 noise3 noise4);

# Names that belong to GLSL, the renderer and the library.
my $owned = qr/^(?:gl_|tv[A-Z_]|TV_|TAVRN_|mr[A-Z_])|__/;

my %glsl_type = (float => 'float', rgb => 'vec3', xyz => 'vec3', rgba => 'vec4');
my $number = qr/[-+]?(?:\d+\.\d*|\.\d+|\d+)(?:[eE][-+]?\d+)?/;

# The directory of the library. Run by hand, it is the one of the scripts.
sub library {
	my $library = $ENV{TAVRN_LIB};
	return $library if defined $library && $library ne '';
	return (__FILE__ =~ m{^(.*)/}s ? $1 : '.') . '/..';
}

# Why something of the user's cannot bear a name, undef if it can.
sub taken {
	my ($name) = @_;
	return "which is $reserved{$name}" if $reserved{$name};
	return 'since names with __ and those beginning gl_, tv, TV_, TAVRN_ and mr belong to the system'
		if $name =~ $owned;
	return undef;
}

# ---------------------------------------------------------------- arginfo

# Reads the section at the head of @$lines, which have no line ends. Gives
# {help => [LINE...], arguments => [ARGUMENT...], taken => lines of the section};
# an argument has name, line (of the section, from 1 on), box, button, comment, stow, lock, pin, and where the
# section tells them type, value, low and high.
sub arginfo {
	my ($lines, $fail) = @_;
	my $taken = 0;
	my $next = sub {
		my ($wanted) = @_;
		$taken < @$lines
			or $fail->("the arginfo section ends early, in line $taken: expected $wanted");
		return $lines->[$taken++];
	};
	my $damaged = sub {
		my ($wanted) = @_;
		my $line = substr $lines->[$taken - 1], 0, 60;
		$line =~ s/[^ -~]/?/g;
		$fail->("the arginfo section is damaged in line $taken: expected $wanted, found '$line'");
	};
	my $expect = sub {
		my ($wanted) = @_;
		$next->("'$wanted'") =~ /^\s*\Q$wanted\E\s*$/ or $damaged->("'$wanted'");
	};

	my (@help, @arguments);
	$expect->('Help');
	$expect->('{');
	while ((my $line = $next->("'}' after the help text")) !~ /^\}\s*$/) {
		$line =~ s/^>// or $damaged->("a help line behind '>'");
		push @help, $line;
	}
	while (1) {
		my $line = $next->("'EndArginfo'");
		next if $line =~ /^\s*$/;
		last if $line =~ /^EndArginfo\s*$/;
		$line =~ /^ArgName\s+(.*?)\s*$/ or $damaged->("'ArgName' or 'EndArginfo'");
		my %arg = (name => $1, line => $taken, box => '?', button => '?', comment => '', stow => 0, lock => 0, pin => 0);
		$expect->('{');
		my $key = '';
		while (($line = $next->("'}' after argument $arg{name}")) !~ /^\}\s*$/) {
			if ($line =~ /^\s*(Stow|Lock|Pin)\s+(-?\d+)\s*$/) {
				$key = $1;
				$arg{lc $key} = $2 + 0;
			} elsif ($line =~ /^\s*(BoxTitle|ButtonTitle|Comments)(?:\s+(.*?))?\s*$/) {
				$key = $1;
				$arg{ { BoxTitle => 'box', ButtonTitle => 'button', Comments => 'comment' }->{$key} }
					= $2 // '';
			} elsif ($line =~ /^\s*(float|xyz|rgb|rgba|string|generic(?::\w+)?)(?:\s+(.*?))?\s*$/) {
				$key = $1;
				@arg{qw(type value)} = ($1, $2 // '');
			} elsif ($line =~ /^\s*MinMax\s+(\S+)\s+(\S+)\s*$/) {
				$key = 'MinMax';
				my @ends = ($1, $2);
				@arg{qw(low high)} = map { /^$number\z/ ? $_ + 0 : 0 } @ends;
			} elsif ($key eq 'Comments') {
				$arg{comment} .= " $line";   # a remark of several lines
			} else {
				$damaged->('a line of an argument');
			}
		}
		push @arguments, \%arg;
	}
	return { help => \@help, arguments => \@arguments, taken => $taken };
}

# The GLSL type of an argument, undef if its value does not tell it.
sub type_of {
	my ($arg) = @_;
	return undef if !defined $arg->{type};
	return $glsl_type{ $arg->{type} } if $arg->{type} !~ /^generic/;
	return $1 if $arg->{value} =~ /^((?:[iub]?vec|mat)[234](?:x[234])?|float|int|uint|bool)\s*\(/;
	return 'float' if $arg->{value} =~ /^$number\z/;
	return undef;
}

# The arguments as the shader has them: of those with one name the first.
sub distinct {
	my ($arguments) = @_;
	my %seen;
	return grep { defined type_of($_) && !$seen{ $_->{name} }++ } @$arguments;
}

# The numbers of an argument's value, undef if it is not made of plain numbers.
sub numbers_of {
	my ($arg) = @_;
	my $type = type_of($arg) // '';
	my $count = $type =~ /vec([234])$/ ? $1
		: $type =~ /^mat([234])(?:x([234]))?$/ ? $1 * ($2 // $1) : 1;
	my $value = $arg->{value} // '';
	$value = $2 if $value =~ /^(\w+)\s*\((.*)\)\z/s && $1 eq $type;
	my @numbers;
	for my $part (split /,/, $value, -1) {
		$part =~ /^\s*($number)[fFuU]?\s*\z/ or return undef;
		push @numbers, $1 + 0;
	}
	@numbers = (@numbers) x $count if @numbers == 1 && $type =~ /vec/;
	return @numbers == $count ? \@numbers : undef;
}

# An argument's remark on one line.
sub remark_of {
	my ($arg) = @_;
	my $comment = $arg->{comment};
	$comment =~ s/[\x00-\x1f\x7f]+/ /g;
	$comment =~ s/[\s\\]+$//;      # a backslash would join the next line
	return $comment;
}

# ---------------------------------------------------------------- options

# The render options as a hash. Lines are: setenv KEY "value", in which \ takes
# the next character as it is.
sub options {
	my ($fail) = @_;
	my $path = $ENV{TAVRN_RENOPTS};
	return {} if !defined $path || $path eq '';
	open my $file, '<:raw', $path or $fail->("cannot read the render options $path: $!");
	-d $file and $fail->("cannot read the render options $path: it is a directory");
	my %options;
	while (my $line = <$file>) {
		$line =~ /^\s*setenv\s+(\S+)\s+"((?:[^"\\]|\\.)*)"\s*$/ or next;
		my ($key, $value) = ($1, $2);
		$value =~ s/\\(.)/$1/g;
		$options{$key} = $value;
	}
	return \%options;
}

sub shader_type {
	my ($options, $fail) = @_;
	my $type = $options->{TAVRN_SHADER_TYPE} // '';
	return $types[0] if $type eq '';
	grep { $_ eq $type } @types
		or $fail->("there is no shader type '$type': it can be " . join(' or ', @types));
	return $type;
}

# The name of a module's function: the shader's name as far as GLSL allows it.
sub function_name {
	my ($name) = @_;
	$name =~ s/[^A-Za-z0-9_]+/_/g;
	$name =~ s/__+/_/g;
	$name =~ s/^_|_$//g;
	return 'shader' if $name eq '';
	return $name =~ /^[A-Za-z]/ && !defined taken($name) ? $name : "shader_$name";
}

# ---------------------------------------------------------------- other files

# The places where a shader would have the compiler read another file, as pairs of
# a line number and the directive. The compiler opens what #include names before it
# complains of anything, and quotes from it, so this has to find more than it
# accepts: a directive in any place of a line, over continued lines, with comments
# and odd blanks in it, within comments and strings. $help tells of a line, counted
# from 0, whether it is one of the document's help text, which a comment of ours
# holds for certain; words about directives may stand there.
sub other_files {
	my ($text, $help) = @_;
	$text =~ s/\\(?:\r\n|\n|\r)/\x01/g;
	my $gap = qr{(?:[\x00-\x09\x0b\x0c\x0e-\x20\x7f]|/\x01*\*.*?\*\x01*/)*}s;
	my $letters = sub { join '\x01*', split //, $_[0] };
	my $include = $letters->('include');
	my $extension = $letters->('extension');
	my @found;
	while ($text =~ /(?=#$gap(?:$include|$extension$gap(\w(?:[\w\x01])*)))/g) {
		my ($at, $name) = ($-[0], $1);
		if (defined $name) {
			$name =~ tr/\x01//d;
			next if $name !~ /include/i;
		}
		my $line = substr($text, 0, $at) =~ tr/\n\x01//;
		push @found, [$line + 1, defined $name ? "#extension $name" : '#include'] if !$help->($line);
	}
	return @found;
}

# ---------------------------------------------------------------- files

# The lines of a file, without their line ends.
sub read_lines {
	my ($path, $fail) = @_;
	open my $file, '<:raw', $path or $fail->("cannot read $path: $!");
	-d $file and $fail->("cannot read $path: it is a directory");
	local $/;
	my @lines = split /\n/, (<$file> // '');
	s/\r$// for @lines;
	return \@lines;
}

# Written aside and renamed, so that a reader finds the old file or the new one.
sub write_file {
	my ($path, $text, $fail) = @_;
	my $aside = "$path.$$.new";
	my $ok = open my $file, '>:raw', $aside;
	$ok &&= print {$file} $text;
	$ok &&= close $file;
	$ok &&= rename $aside, $path;
	return if $ok;
	my $why = "$path: $!";
	unlink $aside;
	$fail->($why);
}

1;
